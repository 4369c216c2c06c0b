#include "representation.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>

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

std::string utf8(const py::str& text, const char* what)
{
  Py_ssize_t size = 0;
  const char* const bytes = PyUnicode_AsUTF8AndSize(text.ptr(), &size);
  if (bytes != nullptr)
    return {bytes, static_cast<std::size_t>(size)};
  PyErr_Clear();
  throw py::value_error(std::string(what) + ": " + std::string(py::repr(text)) +
                        " has half a surrogate pair, so it is no text that can be written");
}

void allowTypeParameter(py::handle record)
{
  const py::object classmethod = py::module_::import("builtins").attr("classmethod");
  record.attr("__class_getitem__") = classmethod(py::module_::import("types").attr("GenericAlias"));
}

}  // namespace binding
