#include "representation.hpp"

#include <array>
#include <charconv>
#include <cmath>

namespace py = pybind11;

namespace binding
{

std::string shortest(float number)
{
  if (!std::isfinite(number))
    return std::isnan(number) ? "nan" : number > 0.f ? "inf" : "-inf";
  std::array<char, 32> buffer{};
  const auto [end, error] = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
  std::string text(buffer.data(), end);
  if (text.find_first_of(".e") == std::string::npos)
    text += ".0";
  return text;
}

std::string representation(py::handle object)
{
  if (PyFloat_CheckExact(object.ptr()))
    return shortest(object.cast<float>());
  return py::repr(object);
}

std::string representation(py::handle record, const std::vector<const char*>& fields)
{
  std::string text = py::str(py::type::handle_of(record).attr("__name__"));
  const char* separator = "(";
  for (const char* field : fields)
  {
    text += separator + std::string(field) + "=" + representation(record.attr(field));
    separator = ", ";
  }
  return text + ")";
}

void allowTypeParameter(py::handle record)
{
  const py::object classmethod = py::module_::import("builtins").attr("classmethod");
  record.attr("__class_getitem__") = classmethod(py::module_::import("types").attr("GenericAlias"));
}

}  // namespace binding
