#pragma once

#include <base/cbDataMethod.h>
#include <base/cbMethod.h>
#include <base/evEvent.h>

// Handlers of widget callbacks (PiWidget::addCallback) that call a member
// function of their owner with the event: void (Owner::*)(EvEvent&). Like
// every CbHandler they leave the widgets they are registered on when
// destroyed, so a panel that owns them disconnects by being destroyed.
template <class Owner>
class UiEventCallback : public CbMethod<Owner, EvEvent> {
public:
    using CbMethod<Owner, EvEvent>::CbMethod;
};

// The same with one stored datum (a slot or tool index):
// void (Owner::*)(EvEvent&, const D&).
template <class Owner, class D>
class UiEventDataCallback : public CbDataMethod<Owner, EvEvent, D> {
public:
    using CbDataMethod<Owner, EvEvent, D>::CbDataMethod;
};
