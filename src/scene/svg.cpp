#include <fmt/format.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <set>
#include <string>
#include <string_view>
#include <variant>

#include "common/markup.hpp"
#include "common/number_format.hpp"
#include "common/shown_text.hpp"
#include "scene/colours.hpp"
#include "scene/element_colours.hpp"
#include "scene/projection.hpp"

namespace dravo {
namespace {

constexpr std::uint32_t kWhite = 0xFFFFFF, kBlack = 0x000000;

/// Light falls on a ball from the upper left: parts of its radius, and what its colour is mixed
/// with.
struct Shade {
  double offset;
  std::uint32_t other;
  double part;
};
constexpr std::array<Shade, 3> kShades{
    {{0.0, kWhite, 0.75}, {0.45, kWhite, 0.0}, {1.0, kBlack, 0.4}}};
constexpr double kLightMiddle = 0.35;

/// The bright stripe along a stick.
constexpr double kStripePart = 0.3, kStripeWhite = 0.55;

/// In pixels.
constexpr double kOutline = 0.8;
constexpr double kHalo = 3.0;  ///< around words

/// Without what XML does not have: control characters, bytes that are no UTF-8, and two codes that
/// are no characters. File names may have all of them.
std::string escaped(std::string_view text) {
  std::string shown = printable(text, std::numeric_limits<std::size_t>::max()).text;
  for (const std::string_view none : {"\uFFFE", "\uFFFF"})
    for (std::size_t at = 0; (at = shown.find(none, at)) != std::string::npos;)
      shown.replace(at, none.size(), 1, '?');
  return escaped_for_markup(shown);
}

/// To hundredths.
std::string number(double value) {
  return shortest_text(std::floor(value * 100.0 + 0.5) / 100.0 + 0.0);
}

std::string points_text(const std::vector<Point>& points) {
  std::string text;
  for (const Point& p : points)
    text += fmt::format("{}{},{}", text.empty() ? "" : " ", number(p.x), number(p.y));
  return text;
}

class SvgWriter {
 public:
  SvgWriter(const Projection& projection, const Paper& paper, const Drawing& drawing)
      : projection_(projection),
        paper_(paper),
        drawing_(drawing),
        palette_(palette_of(drawing.theme)) {}

  std::string write() {
    append_head();
    append_shades();
    text_ += fmt::format("<rect width=\"{}\" height=\"{}\" fill=\"{}\"/>\n", drawing_.width,
                         drawing_.height, hex_of(palette_.background));
    text_ += "<g stroke-linecap=\"round\">\n";
    for (const Mark& mark : projection_.marks)
      std::visit([this](const auto& shape) { append(shape); }, mark.shape);
    text_ += "</g>\n";
    append_words();
    return text_ + "</svg>\n";
  }

 private:
  void append_head() {
    text_ += fmt::format(
        "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"{0}\" height=\"{1}\" "
        "viewBox=\"0 0 {0} {1}\" role=\"img\" aria-labelledby=\"title description\">\n"
        "<title id=\"title\">{2}</title>\n"
        "<desc id=\"description\">{3}</desc>\n",
        drawing_.width, drawing_.height, escaped(drawing_.title), escaped(drawing_.description));
  }

  void append_shades() {
    std::set<std::int32_t> elements;
    for (const Mark& mark : projection_.marks)
      if (const Disc* const disc = std::get_if<Disc>(&mark.shape)) elements.insert(disc->element);
    text_ += "<defs>\n";
    for (const std::int32_t element : elements) {
      text_ += fmt::format(R"(<radialGradient id="e{0}" cx="{1}" cy="{1}" r="0.7">)", element,
                           number(kLightMiddle));
      for (const auto& [offset, other, part] : kShades)
        text_ += fmt::format(R"(<stop offset="{}" stop-color="{}"/>)", number(offset),
                             hex_of(mixed(element_colour(element), other, part)));
      text_ += "</radialGradient>\n";
    }
    text_ += "</defs>\n";
  }

  void append_line(const Point& from, const Point& to, double width, std::uint32_t colour) {
    text_ += fmt::format(
        "<line x1=\"{}\" y1=\"{}\" x2=\"{}\" y2=\"{}\" stroke=\"{}\" stroke-width=\"{}\"/>\n",
        number(from.x), number(from.y), number(to.x), number(to.y), hex_of(colour), number(width));
  }

  void append(const Disc& disc) {
    text_ += fmt::format(
        "<circle cx=\"{}\" cy=\"{}\" r=\"{}\" fill=\"url(#e{})\" stroke=\"{}\" "
        "stroke-width=\"{}\"/>\n",
        number(disc.centre.x), number(disc.centre.y), number(disc.radius), disc.element,
        hex_of(palette_.outline), number(kOutline));
  }

  void append(const Rod& rod) {
    const std::uint32_t colour = element_colour(rod.element);
    append_line(rod.from, rod.to, rod.width + 2.0 * kOutline, palette_.outline);
    append_line(rod.from, rod.to, rod.width, colour);
    append_line(rod.from, rod.to, kStripePart * rod.width, mixed(colour, kWhite, kStripeWhite));
  }

  void append(const Stroke& stroke) {
    append_line(stroke.from, stroke.to, stroke.width, palette_.of(stroke.ink));
  }

  void append(const Polygon& polygon) {
    text_ += fmt::format("<polygon points=\"{}\" fill=\"{}\"/>\n", points_text(polygon.corners),
                         hex_of(palette_.of(polygon.ink)));
  }

  void append_words() {
    text_ += fmt::format(
        "<g font-family=\"sans-serif\" font-size=\"{}\" text-anchor=\"middle\" "
        "paint-order=\"stroke\" stroke=\"{}\" stroke-width=\"{}\" stroke-linejoin=\"round\">\n",
        number(paper_.font), hex_of(palette_.background), number(kHalo));
    constexpr double kToBaseline = 0.35;  // of the height: words stand with their middle on a point
    for (const Words& words : projection_.words)
      text_ +=
          fmt::format("<text x=\"{}\" y=\"{}\" fill=\"{}\">{}</text>\n", number(words.middle.x),
                      number(words.middle.y + kToBaseline * paper_.font),
                      hex_of(palette_.of(words.ink)), escaped(words.text));
    text_ += "</g>\n";
  }

  const Projection& projection_;
  const Paper& paper_;
  const Drawing& drawing_;
  const Palette& palette_;
  std::string text_;
};

}  // namespace

std::string svg_of(const Scene& scene, const Drawing& drawing) {
  const Paper paper = fitted_paper(scene, view_rows(drawing.view), drawing.width, drawing.height);
  return SvgWriter(projected(scene, paper), paper, drawing).write();
}

}  // namespace dravo
