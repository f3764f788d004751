#pragma once

#include <memory>

#include "Peer.h"

/// Peer of a plain window: it paints, or another draws into its native window, and it hears of mouse and wheel.
///
/// `parent`: the widget that it stands in; null for a window of its own.
IWindowPeer* CreatePlainPeer(CWnd* window, QWidget* parent);
