#include "texts.hpp"

namespace py = pybind11;

namespace binding
{

py::str textOf(const std::string& bytes)
{
  return py::reinterpret_steal<py::str>(
      PyUnicode_DecodeFSDefaultAndSize(bytes.data(), static_cast<Py_ssize_t>(bytes.size())));
}

py::list textsOf(const std::vector<std::string>& texts)
{
  py::list list;
  for (const std::string& text : texts)
    list.append(textOf(text));
  return list;
}

}  // namespace binding
