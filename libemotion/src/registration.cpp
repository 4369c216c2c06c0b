#include "bodylanguagestateprivate.hpp"
#include "initialisedearly.hpp"
#include "personstateprivate.hpp"

#include <skeigiot/ambiancestate.hpp>
#include <skeigiot/bodylanguageease.hpp>
#include <skeigiot/bodylanguagestate.hpp>
#include <skeigiot/expressions.hpp>
#include <skeigiot/gaze.hpp>
#include <skeigiot/person.hpp>
#include <skeigiot/personstate.hpp>
#include <skeigiot/smile.hpp>
#include <skeigiot/valueconfidence.hpp>

#include <ko/proxy.hpp>
#include <ko/record.hpp>

#include <string>

namespace KV
{

namespace
{

void includeProxies()
{
  ko::proxy::include(ko::proxy::Family::FrameTypes);
  ko::proxy::include(ko::proxy::Family::HumanService);
  ko::proxy::include(ko::proxy::Family::EmotionService);
}

template <typename T>
void registerValueConfidence(const std::string& className)
{
  using Record = ValueConfidence<T>;
  ko::registerRecord<Record>(className, {{"value", &Record::value}, {"confidence", &Record::confidence}});
}

/// The records that other programs may read by name, in the order that these programs see.
void registerRecords()
{
  ko::registerRecord<AmbianceState>("::KV::AmbianceState", {{"agitationLevel", &AmbianceState::agitationLevel},
                                                            {"calmLevel", &AmbianceState::calmLevel}});
  // Deliberate: the only class name without a leading "::".
  ko::registerRecord<BodyLanguageEase>(
      "KV::BodyLanguageEase", {{"level", &BodyLanguageEase::level}, {"confidence", &BodyLanguageEase::confidence}});
  ko::registerRecord<BodyLanguageStatePrivate>("::KV::BodyLanguageStatePrivate",
                                               {{"ease", &BodyLanguageStatePrivate::ease}});
  ko::registerHandle("::KV::BodyLanguageState", &BodyLanguageState::_p);
  registerValueConfidence<bool>("::KV::ValueConfidence<bool>");
  registerValueConfidence<float>("::KV::ValueConfidence<float>");
  registerValueConfidence<unsigned int>("::KV::ValueConfidence<unsigned int>");
  ko::registerRecord<Expressions>("::KV::Expressions", {{"calm", &Expressions::calm},
                                                        {"anger", &Expressions::anger},
                                                        {"joy", &Expressions::joy},
                                                        {"sorrow", &Expressions::sorrow},
                                                        {"laughter", &Expressions::laughter},
                                                        {"excitement", &Expressions::excitement},
                                                        {"surprise", &Expressions::surprise}});
  ko::registerRecord<Gaze>("::KV::Gaze", {{"yaw", &Gaze::yaw}, {"pitch", &Gaze::pitch}});
  ko::registerRecord<Smile>("::KV::Smile", {{"value", &Smile::value}, {"confidence", &Smile::confidence}});
  ko::registerRecord<PersonStatePrivate>("::KV::PersonStatePrivate",
                                         {{"valence", &PersonStatePrivate::valence},
                                          {"attention", &PersonStatePrivate::attention},
                                          {"bodyLanguageState", &PersonStatePrivate::bodyLanguageState},
                                          {"smile", &PersonStatePrivate::smile},
                                          {"expressions", &PersonStatePrivate::expressions}});
  ko::registerHandle("::KV::PersonState", &PersonState::_p);
  ko::registerRecord<Person>("::KV::Person", {{"personID", &Person::personID}, {"personState", &Person::personState}});
}

}  // namespace

/// Registers once, when the library is loaded.
struct Registration
{
  Registration()
  {
    includeProxies();
    registerRecords();
  }
};

/// Not internal, since the linker must find it in the static library: no other unit names this one.
extern const Registration registration;
SKEIGIOT_INITIALISED_EARLY const Registration registration;

}  // namespace KV
