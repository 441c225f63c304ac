/*
 * TVPMGraphics.h: the simulator's rendering state, textures, fonts, text
 * drawing and conversions between world and local coordinates, for plugins
 * that draw in their callbacks.
 *
 * Each call passes its arguments unchanged to the simulator and returns its
 * answer; TVPM keeps no state and makes no checks, so these are cheap
 * enough to call many times per frame. Drawing calls belong in drawing
 * callbacks. Output pointers are the caller's and are passed on as given.
 *
 * [plugin-thread] for every function (checked only under the simulator's
 * plugin diagnostics). Terms are defined in TVPMDefs.h.
 */
#ifndef TVPMGraphics_h
#define TVPMGraphics_h

#include "TVPMDefs.h"

#ifdef __cplusplus
extern "C" {
#endif

/* The simulator's fonts. */
enum { tvpmFont_Basic = 0, tvpmFont_Proportional = 18 };

/* The simulator's own textures, for TVPMGetTexture. */
enum { tvpm_Tex_GeneralInterface = 0, tvpm_Tex_Radar_Pilot = 1, tvpm_Tex_Radar_Copilot = 2 };

/* Sets the rendering state for plugin drawing; each argument is 0 or 1,
 * except inNumberTexUnits (how many texture units are enabled). */
TVPM_API void TVPMSetGraphicsState(int inEnableFog, int inNumberTexUnits, int inEnableLighting,
                                   int inEnableAlphaTesting, int inEnableAlphaBlending,
                                   int inEnableDepthTesting, int inEnableDepthWriting);
/* Binds a texture to a texture unit, through the simulator's state cache. */
TVPM_API void TVPMBindTexture2d(int inTextureID, int inTextureUnit);
/* Fills outTextureIDs (inCount entries, the caller's) with free texture IDs. */
TVPM_API void TVPMGenerateTextureNumbers(int* outTextureIDs, int inCount);
/* The texture ID behind one of the simulator's own textures. */
TVPM_API int TVPMGetTexture(TVPMTextureID inTexture);

/* Converts between latitude, longitude, elevation (metres) and the local
 * OpenGL frame. */
TVPM_API void TVPMWorldToLocal(double inLatitude, double inLongitude, double inAltitude,
                               double* outX, double* outY, double* outZ);
TVPM_API void TVPMLocalToWorld(double inX, double inY, double inZ, double* outLatitude,
                               double* outLongitude, double* outAltitude);

/* Draws the simulator's translucent dark box, in window pixels. */
TVPM_API void TVPMDrawTranslucentDarkBox(int inLeft, int inTop, int inRight, int inBottom);
/* Draws text at a baseline position, wrapping at *inWordWrapWidth when given.
 * inColorRGB: three floats 0..1. Text is read during the call. */
TVPM_API void TVPMDrawString(float* inColorRGB, int inXOffset, int inYOffset, const char* inChar,
                             int* inWordWrapWidth, TVPMFontID inFontID);
/* Draws a number with the given digits and decimals, signed when inShowSign. */
TVPM_API void TVPMDrawNumber(float* inColorRGB, int inXOffset, int inYOffset, double inValue,
                             int inDigits, int inDecimals, int inShowSign, TVPMFontID inFontID);
/* A font's character cell and whether it has only digits; outputs may be null. */
TVPM_API void TVPMGetFontDimensions(TVPMFontID inFontID, int* outCharWidth, int* outCharHeight,
                                    int* outDigitsOnly);
/* The width in pixels of inNumChars characters of inChar. */
TVPM_API float TVPMMeasureString(TVPMFontID inFontID, const char* inChar, int inNumChars);

#ifdef __cplusplus
}
#endif

#endif /* TVPMGraphics_h */
