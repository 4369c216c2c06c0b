#pragma once

/// \file
/// Marks what libko.so exports; every other symbol of the library stays hidden.

#define KO_API __attribute__((visibility("default")))
