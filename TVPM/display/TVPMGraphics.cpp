// TVPMGraphics.cpp: rendering state, textures, fonts, text and coordinate conversions, each passed unchanged to its simulator slot.
#include "TVPMGraphics.h"

#include "TVPMDispatch.h"
#include "TVPMForward.h"

// These run inside drawing callbacks, often many times a frame: no checks;
// the thread is checked only under plugin diagnostics (one branch when off).
// X(return type, exported name, slot, (parameters), (arguments))
#define TVPM_GRAPHICS_FORWARDERS(X)                                                             \
    X(void, TVPMSetGraphicsState, TVPMSetGraphicsState_f,                                       \
      (int fog, int texUnits, int lighting, int alphaTesting, int alphaBlending,                \
       int depthTesting, int depthWriting),                                                     \
      (fog, texUnits, lighting, alphaTesting, alphaBlending, depthTesting, depthWriting))       \
    X(void, TVPMBindTexture2d, TVPMBindTexture2d_f, (int texture, int unit), (texture, unit))   \
    X(void, TVPMGenerateTextureNumbers, TVPMGenerateTextureIDs_f, (int* outIDs, int count),     \
      (outIDs, count))                                                                          \
    X(int, TVPMGetTexture, TVPMGetTexture_f, (TVPMTextureID texture), (texture))                \
    X(void, TVPMWorldToLocal, TVPMWorldToLocal_f,                                               \
      (double lat, double lon, double alt, double* x, double* y, double* z),                    \
      (lat, lon, alt, x, y, z))                                                                 \
    X(void, TVPMLocalToWorld, TVPMLocalToWorld_f,                                               \
      (double x, double y, double z, double* lat, double* lon, double* alt),                    \
      (x, y, z, lat, lon, alt))                                                                 \
    X(void, TVPMDrawTranslucentDarkBox, TVPMDrawTranslucentDarkBox_f,                           \
      (int left, int top, int right, int bottom), (left, top, right, bottom))                   \
    X(void, TVPMDrawString, TVPMDrawString_f,                                                   \
      (float* rgb, int x, int y, const char* text, int* wrapWidth, TVPMFontID font),            \
      (rgb, x, y, text, wrapWidth, font))                                                       \
    X(void, TVPMDrawNumber, TVPMDrawNumber_f,                                                   \
      (float* rgb, int x, int y, double value, int digits, int decimals, int showSign,          \
       TVPMFontID font),                                                                        \
      (rgb, x, y, value, digits, decimals, showSign, font))                                     \
    X(void, TVPMGetFontDimensions, TVPMGetFontDimensions_f,                                     \
      (TVPMFontID font, int* charWidth, int* charHeight, int* digitsOnly),                      \
      (font, charWidth, charHeight, digitsOnly))                                                \
    X(float, TVPMMeasureString, TVPMMeasureString_f,                                            \
      (TVPMFontID font, const char* text, int numChars), (font, text, numChars))

#define TVPM_GRAPHICS_FORWARDER(ret, name, slot, params, args) \
    TVPM_FORWARD_TO_SLOT(TVPM_CHECK_THREAD_IF_DIAGNOSING(), ret, name, slot, params, args)

TVPM_GRAPHICS_FORWARDERS(TVPM_GRAPHICS_FORWARDER)
