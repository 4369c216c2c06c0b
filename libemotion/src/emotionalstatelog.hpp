#pragma once

namespace KV
{

/// The category and the source file in all log records of the person state, from any of its source files.
constexpr const char* emotionalStateCategory = "kvmood.emotionalstate";
constexpr const char* emotionalStateSourceFile = "libemotion/src/personstate";

}  // namespace KV
