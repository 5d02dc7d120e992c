#include <dlfcn.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "common/build_options.hpp"
#include "common/installed_file.hpp"
#include "dravo/drawing.hpp"
#include "dravo/error.hpp"

namespace dravo {
namespace {

/// See png_module.cpp.
using PngOfSvg = void (*)(std::string_view svg, int width, int height, std::string& png,
                          std::string& failure);

/// Stays loaded: its libraries cannot be unloaded.
PngOfSvg load() {
  if (!kBuiltWithPng)
    throw IoFailure(
        "this build makes no PNG pictures: install the Debian package librsvg2-dev and build again, "
        "or write an SVG");
  const std::string module = installed_file("module", "dravo-png.so", "DRAVO_PNG_MODULE");
  void* const loaded = ::dlopen(module.c_str(), RTLD_NOW | RTLD_LOCAL);
  void* const function = loaded != nullptr ? ::dlsym(loaded, "dravo_png_of_svg") : nullptr;
  if (function == nullptr) throw IoFailure(fmt::format("cannot be loaded: {}", ::dlerror()));
  return reinterpret_cast<PngOfSvg>(function);
}

/// librsvg needs some 3 KB of memory for an element, and takes a million of them at most.
constexpr std::ptrdiff_t kMostElements = 300'000;

}  // namespace

std::string png_of(const Scene& scene, const Drawing& drawing) {
  const auto draw = load();
  const std::string svg = svg_of(scene, drawing);
  if (std::count(svg.begin(), svg.end(), '<') > kMostElements)
    throw IoFailure(
        "a PNG picture of so many atoms would take gigabytes of memory: write an SVG or a BILD file");
  std::string png, failure;
  draw(svg, drawing.width, drawing.height, png, failure);
  if (!failure.empty()) throw IoFailure("librsvg makes no picture: " + failure);
  return png;
}

}  // namespace dravo
