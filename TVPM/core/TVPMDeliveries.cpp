// TVPMDeliveries.cpp: queueing deferred work for a plugin and handing it over when the plugin can take it.
#include "TVPMPrivate.h"

TVPMDeliveryHead orphaned;

void TVPMQueueDelivery(TVPMDelivery* d) {
    PluginRecord* r = TVPMGetPluginRecord(d->plugin);
    if (!r) {
        TVPMSendError("Internal error: async queue pending but the plugin ID is invalid.");
        return;
    }
    r->outstanding.PushFront(d);
}

void TVPMSendDelivery(TVPMDelivery* d) {
    d->Unlink();
    if (d->plugin == TVPM_NO_PLUGIN_ID) {
        d->DeliverToPlugin(true);
        return;
    }
    PluginRecord* r = TVPMGetPluginRecord(d->plugin);
    if (!r) {  // not a plugin any more: only let the delivery release itself
        d->DeliverToPlugin(true);
        return;
    }
    const TVPMCalled called =
        TVPMCallPlugin(d->plugin, TVPMCallSite::kDelivery, [&] { d->DeliverToPlugin(false); });
    if (called == TVPMCalled::kNo) r->pending.PushFront(d);
}

