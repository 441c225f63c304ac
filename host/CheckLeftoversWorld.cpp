// CheckLeftoversWorld.cpp: what a checked plugin still holds of the world's controls when the simulator shuts down.
#include "SimWorld.h"
#include "TVPMApi.h"

namespace tvpmhost {

std::vector<std::string> WorldControlsStillHeld() {
    std::vector<std::string> held;
    if (Api().IsCameraBeingControlled && Api().IsCameraBeingControlled(nullptr))
        held.push_back(
            "the plugin still controlled the camera at shut-down: give it back "
            "(return 0 from the camera callback, or TVPMDontControlCamera) when done");
    return held;
}

}  // namespace tvpmhost
