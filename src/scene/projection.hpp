/// A scene as somebody sees it: flat marks in the order in which they are painted.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "common/vector.hpp"
#include "dravo/drawing.hpp"
#include "dravo/scene.hpp"

namespace dravo {

/// Pixels, from the upper left corner to the right and downwards.
struct Point {
  double x;
  double y;
};

struct Disc {
  Point centre;
  double radius;
  std::int32_t element;
};

/// Half of a bond, as far as it is outside of its atom.
struct Rod {
  Point from;
  Point to;
  double width;
  std::int32_t element;
};

struct Stroke {
  Point from;
  Point to;
  double width;
  Ink ink;
};

struct Polygon {
  std::vector<Point> corners;
  Ink ink;
};

struct Mark {
  std::int64_t depth;  ///< towards who looks, millionths of an Angstrom
  std::variant<Disc, Rod, Stroke, Polygon> shape;
};

struct Words {
  Point middle;
  std::string text;
  Ink ink;
};

struct Projection {
  std::vector<Mark> marks;   ///< what is behind comes first
  std::vector<Words> words;  ///< in front of all
};

/// Rows: to the right, upwards, towards who looks.
Matrix3 view_rows(const ViewDirection& view);

/// How scenes go on paper: a point p of the scene is at `scale` (right p, -up p) + `origin`.
struct Paper {
  Matrix3 rows;
  double scale;  ///< pixels for one Angstrom
  Point origin;
  double font;  ///< height of words, pixels
};

/// Such that the scene fills a picture of this size.
Paper fitted_paper(const Scene& scene, const Matrix3& rows, double width, double height);

Projection projected(const Scene& scene, const Paper& paper);

}  // namespace dravo
