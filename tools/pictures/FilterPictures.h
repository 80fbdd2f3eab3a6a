#pragma once

#include "host/TavixHost.h"

class QWidget;

namespace tavix::pictures {

class Album;

/// Pictures of the filter dialog and of `window` with a filtered list. Does nothing unless a list that can be filtered
/// is showing; leaves the list without a filter.
void takeFilter(QWidget& window, Veldra::Solenne::Tavix::TavixHost& host, Album& album);

} // namespace tavix::pictures
