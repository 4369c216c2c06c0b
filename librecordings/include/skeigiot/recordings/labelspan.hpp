#pragma once

#include <skeigiot/api.hpp>

#include <string>

namespace KV::recordings
{

/// A label that a coder gave to a span of time.
struct SKEIGIOT_API LabelSpan
{
  double from = 0.;    ///< [s] since the start of the recording
  double to = 0.;      ///< [s], never before `from`; the same for an event without duration
  std::string label;   ///< as the coder wrote it, without blanks around it
  std::string person;  ///< whom it is about, as the file names the person; empty: not said
  std::string coder;  ///< who coded it; the name of the file, without folder and extension, where the file does not say
  std::string tier;   ///< tier (ELAN, Praat), observation (BORIS), or column tier (CSV); empty without a tier
};

}  // namespace KV::recordings
