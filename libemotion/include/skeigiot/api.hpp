#pragma once

/// \file
/// Marks what libskeigiot.so exports; every other symbol of the library stays hidden.

/// Exports a class, a function or a variable from libskeigiot.so.
#define SKEIGIOT_API __attribute__((visibility("default")))
