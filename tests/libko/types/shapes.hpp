#pragma once

#include <ko/record.hpp>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// Records and a handle of the tests' own, registered with the type system.
namespace shapes
{

struct Point
{
  int x = 0;
  float y = 0.f;
};

struct Outline
{
  std::string label;
  std::vector<Point> points;
  std::map<std::string, double> measures;
  std::optional<Point> centre;
};

/// A record with mutable parts behind a handle.
struct CanvasRecord
{
  Point origin;
  Outline outline;
};

struct Canvas
{
  std::shared_ptr<CanvasRecord> record = std::make_shared<CanvasRecord>();
  int notRegistered = 0;
};

inline bool registerShapes()
{
  return ko::registerRecord<Point>("::shapes::Point", {{"x", &Point::x}, {"y", &Point::y}}) &&
         ko::registerRecord<Outline>("::shapes::Outline", {{"label", &Outline::label},
                                                           {"points", &Outline::points},
                                                           {"measures", &Outline::measures},
                                                           {"centre", &Outline::centre}}) &&
         ko::registerRecord<CanvasRecord>("::shapes::CanvasRecord",
                                          {{"origin", &CanvasRecord::origin}, {"outline", &CanvasRecord::outline}}) &&
         ko::registerHandle("::shapes::Canvas", &Canvas::record);
}

inline const bool registered = registerShapes();

}  // namespace shapes
