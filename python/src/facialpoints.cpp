#include "enumerations.hpp"
#include "module.hpp"
#include "representation.hpp"
#include "valueconfidence.hpp"

#include <skeigiot/facialpoints.hpp>

namespace py = pybind11;

namespace binding
{

namespace
{

constexpr int numberOfPoints = 12;

KV::FacialPoints make(const py::iterable& points)
{
  KV::FacialPoints made;
  int number = 0;
  for (const py::handle point : points)
    made.setFacialPoint(static_cast<KV::PointDescription>(number++), point.cast<KV::FacialPoints::Point>());
  return made;
}

py::list allPoints(const KV::FacialPoints& self)
{
  py::list points;
  for (int number = 0; number < numberOfPoints; ++number)
    points.append(self.facialPoint(static_cast<KV::PointDescription>(number)));
  return points;
}

}  // namespace

void bindFacialPoints(py::module_& module)
{
  py::class_<KV::FacialPoints>(module, "FacialPoints",
                               "Twelve landmarks of one face: position in the image (x then y, [px]) with a confidence "
                               "each.")
      .def(py::init(&make), py::arg("points") = py::tuple(),
           "Stores these points, at most twelve, from FacialPoint0 on; the others are (0, 0) with confidence 0.")
      .def("setFacialPoint", &KV::FacialPoints::setFacialPoint, py::arg("d"), py::arg("point"),
           "Stores the point as it is given.\n\n"
           "Raises ValueError \"Error while getting point <d>, wrong argument.\\n\" if d is not 0 to 11; nothing is "
           "stored then.")
      .def("facialPoint", &KV::FacialPoints::facialPoint, py::arg("d"),
           "Returns the point.\n\n"
           "Raises ValueError \"Error while getting point <d>, wrong argument.\\n\" if d is not 0 to 11.")
      .def("globalConfidence", &KV::FacialPoints::globalConfidence,
           "Returns the mean of the twelve confidences; a point that was never set counts as 0.")
      .def_property_readonly("points", &allPoints, "all twelve points, in the order of their numbers")
      .def("__repr__",
           [](const KV::FacialPoints& self) { return "FacialPoints(" + representation(allPoints(self)) + ")"; })
      .def(
          "__eq__",
          [](const KV::FacialPoints& self, const KV::FacialPoints& other) {
            return allPoints(self).equal(allPoints(other));
          },
          py::is_operator(), py::arg("other"))
      .def("__reduce__", [](const py::object& self) {
        return py::make_tuple(py::type::of(self), py::make_tuple(self.attr("points")));
      });
}

}  // namespace binding
