#include "enumerations.hpp"
#include "module.hpp"
#include "representation.hpp"

#include <skeigiot/ramp.hpp>

namespace py = pybind11;

namespace binding
{

namespace
{

/// A ramp whose slope is known only at run time.
struct AnyRamp
{
  KV::RampSlope slope;
  float center;
  float width;
  float amplitude;

  float operator()(float x) const
  {
    return slope == KV::RampDown ? KV::Ramp<KV::RampDown, float, float>(center, width, amplitude)(x)
                                 : KV::Ramp<KV::RampUp, float, float>(center, width, amplitude)(x);
  }
};

AnyRamp make(KV::RampSlope slope, float center, float width, float amplitude)
{
  if (slope != KV::RampDown && slope != KV::RampUp)
    throw py::value_error("there is no ramp of slope " + std::to_string(slope));
  return {slope, center, width, amplitude};
}

}  // namespace

void bindRamp(py::module_& module)
{
  py::class_<AnyRamp> ramp(module, "Ramp",
                           "A smooth step between 0 and an amplitude, in single precision.\n\n"
                           "    k = 4 / width,  t = tanh((x - center) * k)\n"
                           "    RampDown: ((1 - t) * amplitude) * 0.5        RampUp: ((t + 1) * amplitude) * 0.5\n\n"
                           "Half the amplitude at the center; about 98 % of the transition lies within the width. A "
                           "width of 0 divides by zero, which gives NaN or an end of the ramp.");
  ramp.def(py::init(&make), py::arg("slope"), py::arg("center") = 0.f, py::arg("width") = 0.f,
           py::arg("amplitude") = 0.f,
           "Stores the numbers as they are given. Raises ValueError for another slope than the two of RampSlope.")
      .def("__call__", &AnyRamp::operator(), py::arg("x"), "Returns the height of the ramp at x.")
      .def_readonly("slope", &AnyRamp::slope)
      .def_readwrite("center", &AnyRamp::center, "input at which the output is half the amplitude")
      .def_readwrite("width", &AnyRamp::width, "span of input over which the transition is made")
      .def_readwrite("amplitude", &AnyRamp::amplitude, "output at the high end");
  describeRecord(ramp, {"slope", "center", "width", "amplitude"});
}

}  // namespace binding
