#pragma once

/// \file
/// Marks what libskeigiot.so exports; every other symbol of the library stays hidden.

#define SKEIGIOT_API __attribute__((visibility("default")))
