// SimServices.h: the simulator's weather store, maps and graphics counters, and the check's audit of what plugins left in them.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "TVPMHost.h"

namespace tvpmhost {

// Weather slots: each plugin's weather, kept per plugin and replaced by a
// full (non-incremental) update.
void FillWeatherSlots(TVPMHooks& hooks);
// Wraps the graphics slots already filled so that each call is counted.
void CountGraphicsSlots(TVPMHooks& hooks);
// Graphics calls per plugin path, then per slot name.
const std::map<std::string, std::map<std::string, long>>& GraphicsCalls();

// Tells TVPM that the simulator's two maps exist (once, after start-up).
void AnnounceMaps();
// Draws every live plugin layer once, as a map window does each frame.
void DrawMapLayers();

// Adds the check's findings about the checked plugin at path (the only one
// loaded, so its "[name]: " log lines are pluginWarnings): weather it left, a
// bulk update it left open, map layers still registered, and its graphics
// use. add(kind, text) with kind "problem" or "note".
void AuditWorldServices(const std::string& path, const std::vector<std::string>& pluginWarnings,
                        const std::function<void(const char*, const std::string&)>& add);

}  // namespace tvpmhost
