#include "viewer/scene/offscreencontext.h"

#include "numeric/exception.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <cstring>

namespace
{
constexpr const char* signature = "OffscreenContext::OffscreenContext()";

[[noreturn]] void fail(const std::string& what)
{
  throw UsageError(signature, "Pictures cannot be drawn here without a display: " + what);
}

EGLDisplay surfacelessDisplay()
{
  const char* const extensions = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
  if (extensions != nullptr && std::strstr(extensions, "EGL_MESA_platform_surfaceless") != nullptr)
    return eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr);
  return eglGetDisplay(EGL_DEFAULT_DISPLAY);
}
} // namespace

struct OffscreenContext::Handles
{
  EGLDisplay display = EGL_NO_DISPLAY;
  EGLContext context = EGL_NO_CONTEXT;

  ~Handles()
  {
    if (display == EGL_NO_DISPLAY) return;
    eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    if (context != EGL_NO_CONTEXT) eglDestroyContext(display, context);
    eglTerminate(display);
  }
};

OffscreenContext::OffscreenContext() : _handles(std::make_unique<Handles>())
{
  const EGLDisplay display = surfacelessDisplay();
  if (display == EGL_NO_DISPLAY || eglInitialize(display, nullptr, nullptr) != EGL_TRUE) fail("EGL does not start");
  _handles->display = display;
  if (eglBindAPI(EGL_OPENGL_API) != EGL_TRUE) fail("EGL has no OpenGL");
  const EGLint wanted[] = {EGL_SURFACE_TYPE, EGL_DONT_CARE, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_NONE};
  EGLConfig config = nullptr;
  EGLint count = 0;
  if (eglChooseConfig(display, wanted, &config, 1, &count) != EGL_TRUE || count == 0) fail("there is no OpenGL");
  _handles->context = eglCreateContext(display, config, EGL_NO_CONTEXT, nullptr);
  if (_handles->context == EGL_NO_CONTEXT) fail("no OpenGL context can be made");
  if (eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, _handles->context) != EGL_TRUE)
    fail("OpenGL needs a window");
}

OffscreenContext::~OffscreenContext() = default;
