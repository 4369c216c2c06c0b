#include "columns.hpp"

#include "texts.hpp"

#include <pybind11/numpy.h>

#include <algorithm>
#include <memory>
#include <type_traits>
#include <utility>

namespace py = pybind11;

namespace binding
{

namespace
{

/// Returns an array that owns the values, without a copy.
template <typename T>
py::object arrayOf(std::vector<T>&& values)
{
  auto owned = std::make_unique<std::vector<T>>(std::move(values));
  const auto size = static_cast<py::ssize_t>(owned->size());
  const T* const data = owned->data();
  const py::capsule owner(owned.get(), [](void* vector) { delete static_cast<std::vector<T>*>(vector); });
  static_cast<void>(owned.release());
  return py::array_t<T>(size, data, owner);
}

}  // namespace

void Columns::operator()(const char* name, std::string_view value)
{
  Texts& column = _storedAs<Texts>(name);
  const auto found = std::find(column.texts.begin(), column.texts.end(), value);
  column.codes.push_back(static_cast<std::int32_t>(found - column.texts.begin()));
  if (found == column.texts.end())
    column.texts.emplace_back(value);
}

py::dict Columns::take()
{
  py::dict columns;
  for (Column& column : _columns)
    std::visit(
        [&](auto& values) {
          if constexpr (std::is_same_v<Texts&, decltype(values)>)
            columns[column.name] = py::make_tuple(arrayOf(std::move(values.codes)), textsOf(values.texts));
          else if constexpr (std::is_same_v<Values<std::uint8_t>&, decltype(values)>)
            columns[column.name] = arrayOf(std::move(values)).attr("view")("bool");
          else
            columns[column.name] = arrayOf(std::move(values));
        },
        column.values);
  _columns.clear();
  return columns;
}

}  // namespace binding
