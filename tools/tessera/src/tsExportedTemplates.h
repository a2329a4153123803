#pragma once

// The host templates this module instantiates and exports for sibling
// modules (tsExportedTemplates.cpp defines them). Every source file of the
// module sees these declarations before any other header, through the
// build's forced include: a class gets its visibility where it is first
// instantiated, and the linker keeps the most hidden of its copies.
#include "tsExport.h"

#include <base/cbDispatcher.h>
#include <base/cbEmptyType.h>
#include <base/evEvent.h>
#include <base/iterator.h>
#include <base/iteratorEmpty.h>
#include <base/prdPredicate.h>
#include <tesseraCore/tsMgTypes.h>

extern template class TS_UI_EXPORT CbDispatcher<CbEmptyType>;
extern template class TS_UI_EXPORT CbHandler<CbEmptyType>;
extern template class TS_UI_EXPORT CbDispatcher<const TsMgTypes::MatteParam>;
extern template class TS_UI_EXPORT CbHandler<const TsMgTypes::MatteParam>;

extern template class TS_UI_EXPORT PrdPredicate<EvEvent>;
extern template class TS_UI_EXPORT PrdPredicateImp<EvEvent>;
extern template class TS_UI_EXPORT PrdCompositePredicateImp<EvEvent>;
extern template class TS_UI_EXPORT PrdAndPredicateImp<EvEvent>;
extern template class TS_UI_EXPORT PrdOrPredicateImp<EvEvent>;
extern template class TS_UI_EXPORT PrdNotPredicateImp<EvEvent>;
extern template class TS_UI_EXPORT PrdAllPredicateImp<EvEvent>;
extern template class TS_UI_EXPORT PrdFunctorPredicateImp<EvEvent>;

#include <ui/uiNodeWidgetFactory.h>

extern template class TS_UI_EXPORT Iterator<UiNodeWidgetFactory::Item>;
extern template class TS_UI_EXPORT IteratorEmpty<UiNodeWidgetFactory::Item>;

#include "tsMgInputValues.h"

// RCShdPtr declares no destructor of its own: RCBasePtr's releases the value.
extern template TS_UI_EXPORT RCBasePtr<TsMgInputValues>::~RCBasePtr();
extern template TS_UI_EXPORT RCBasePtr<const TsMgInputValues>::~RCBasePtr();
extern template class TS_UI_EXPORT RCShdPtr<TsMgInputValues>;
extern template class TS_UI_EXPORT RCShdPtr<const TsMgInputValues>;
extern template TS_UI_EXPORT void RCBasePtr<TsMgInputValues>::dump(std::ostream&) const;
extern template TS_UI_EXPORT void RCBasePtr<const TsMgInputValues>::dump(std::ostream&) const;
