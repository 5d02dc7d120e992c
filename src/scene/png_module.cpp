/// Pictures of SVG by librsvg, in a module of their own: its libraries would take longer to load
/// than most commands run.

#include <cairo.h>
#include <glib-object.h>
#include <librsvg/rsvg.h>

#include <memory>
#include <string>
#include <string_view>

namespace {

/// Released by the function of its library.
template <auto release>
struct Release {
  template <class T>
  void operator()(T* object) const {
    release(object);
  }
};
using Picture = std::unique_ptr<RsvgHandle, Release<g_object_unref>>;
using Surface = std::unique_ptr<cairo_surface_t, Release<cairo_surface_destroy>>;
using Context = std::unique_ptr<cairo_t, Release<cairo_destroy>>;

cairo_status_t append(void* to, const unsigned char* bytes, unsigned int count) {
  static_cast<std::string*>(to)->append(reinterpret_cast<const char*>(bytes), count);
  return CAIRO_STATUS_SUCCESS;
}

std::string reason_of(GError* error) {
  std::string reason = error != nullptr ? error->message : "it does not say why";
  g_clear_error(&error);
  return reason;
}

}  // namespace

/// Writes the bytes of the PNG file to `png`, or what went wrong to `failure`.
extern "C" __attribute__((visibility("default"))) void dravo_png_of_svg(std::string_view svg,
                                                                        int width, int height,
                                                                        std::string& png,
                                                                        std::string& failure) {
  GError* error = nullptr;
  const Picture picture(
      rsvg_handle_new_from_data(reinterpret_cast<const guint8*>(svg.data()), svg.size(), &error));
  if (!picture) {
    failure = reason_of(error);
    return;
  }
  const Surface surface(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height));
  const Context context(cairo_create(surface.get()));
  const RsvgRectangle page{0.0, 0.0, static_cast<double>(width), static_cast<double>(height)};
  if (rsvg_handle_render_document(picture.get(), context.get(), &page, &error) == 0) {
    failure = reason_of(error);
    return;
  }
  const cairo_status_t status = cairo_surface_write_to_png_stream(surface.get(), append, &png);
  if (status != CAIRO_STATUS_SUCCESS) failure = cairo_status_to_string(status);
}
