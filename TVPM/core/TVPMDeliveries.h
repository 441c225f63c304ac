// TVPMDeliveries.h: deferred work that reaches a plugin only while it is enabled.
#pragma once

#include "TVPMHost.h"

// ---------------------------------------------------------------------------
// Deferred deliveries: results of asynchronous work that reach a plugin only
// while it is enabled.

class TVPMDelivery {
public:
    TVPMDelivery() = default;
    virtual ~TVPMDelivery() = default;
    TVPMDelivery(const TVPMDelivery&) = delete;
    TVPMDelivery& operator=(const TVPMDelivery&) = delete;

    // Hands the result over (targetGone false) or, when the recipient no longer
    // exists (targetGone true), only disposes of itself. Either way the delivery
    // may delete itself.
    virtual void DeliverToPlugin(bool targetGone) = 0;

    void Unlink() {
        if (prev) prev->next = next;
        if (next) next->prev = prev;
        next = prev = nullptr;
    }
    void InsertAfter(TVPMDelivery* where) {
        next = where->next;
        prev = where;
        if (where->next) where->next->prev = this;
        where->next = this;
    }

    TVPMPluginID plugin = -1;
    TVPMDelivery* next = nullptr;
    TVPMDelivery* prev = nullptr;
};

// A queue head; never delivered itself.
class TVPMDeliveryHead : public TVPMDelivery {
public:
    void DeliverToPlugin(bool) override {}
    bool empty() const { return next == nullptr; }
    TVPMDelivery* first() const { return next; }
    void PushFront(TVPMDelivery* d) { d->InsertAfter(this); }
};

// Deliveries whose sender was unloaded while the work was in flight.
extern TVPMDeliveryHead orphaned;

void TVPMQueueDelivery(TVPMDelivery* d);
void TVPMSendDelivery(TVPMDelivery* d);
