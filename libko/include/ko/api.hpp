#pragma once

/// \file
/// Marks what libko.so exports; every other symbol of the library stays hidden.

/// Exports a class, a function or a variable from libko.so.
#define KO_API __attribute__((visibility("default")))
