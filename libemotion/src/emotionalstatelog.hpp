#pragma once

namespace KV
{

/// How the person state signs its log records, whichever of its units writes them.
constexpr const char* emotionalStateCategory = "kvmood.emotionalstate";
constexpr const char* emotionalStateSourceFile = "libemotion/src/personstate";

}  // namespace KV
