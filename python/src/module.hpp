#pragma once

#include <pybind11/pybind11.h>

/// \file
/// The parts of the extension: each function adds the classes and functions of one concern. They are called with
/// the interpreter lock held, in the order in which their signatures refer to each other.

namespace binding
{

void bindEnumerations(pybind11::module_& module);
void bindTimes(pybind11::module_& module);
void bindClock(pybind11::module_& module);
void bindLog(pybind11::module_& module);
void bindRecords(pybind11::module_& module);
void bindFacialPoints(pybind11::module_& module);
void bindObservation(pybind11::module_& module);
void bindFinite(pybind11::module_& module);
void bindMemory(pybind11::module_& module);
void bindRamp(pybind11::module_& module);
void bindClassification(pybind11::module_& module);
void bindBodyLanguage(pybind11::module_& module);
void bindAmbiance(pybind11::module_& module);
void bindState(pybind11::module_& module);
void bindPerson(pybind11::module_& module);
void bindPacer(pybind11::module_& module);
void bindGraph(pybind11::module_& module);
void bindRecorder(pybind11::module_& module);
void bindForces(pybind11::module_& module);
void bindReplay(pybind11::module_& module);
void bindStudy(pybind11::module_& module);

}  // namespace binding
