// thrower.cpp: a plugin whose draw callback, menu handler, command handler and message handler all throw.
#include <cstring>
#include <stdexcept>

#include "TVPM/TVPMDisplay.h"
#include "TVPM/TVPMMenus.h"
#include "TVPM/TVPMUtilities.h"

namespace {

int ThrowFromDraw(TVPMDrawingPhase, int, void*) { throw std::runtime_error("draw"); }
void ThrowFromMenu(void*, void*) { throw std::logic_error("menu"); }
int ThrowFromCommand(TVPMCommandRef, TVPMCommandPhase, void*) { throw 42; }  // not a std::exception

}  // namespace

TVPM_PLUGIN_API int TPluginStart(char* outName, char* outSig, char* outDesc) {
    strcpy(outName, "thrower");
    strcpy(outSig, "test.thrower");
    strcpy(outDesc, "Throws from every callback.");
    TVPMRegisterDrawCallback(ThrowFromDraw, tvpm_Phase_FirstScene, 1, nullptr);
    TVPMMenuID menu = TVPMCreateMenu("Thrower", nullptr, 0, ThrowFromMenu, nullptr);
    TVPMAppendMenuItem(menu, "Throw", nullptr, 0);
    TVPMRegisterCommandHandler(TVPMFindCommand("test/throw"), ThrowFromCommand, 1, nullptr);
    return 1;
}
TVPM_PLUGIN_API void TPluginStop(void) {}
TVPM_PLUGIN_API int TPluginEnable(void) { return 1; }
TVPM_PLUGIN_API void TPluginDisable(void) {}
TVPM_PLUGIN_API void TPluginReceiveMessage(TVPMPluginID, int, void*) {
    throw std::runtime_error("message");
}
