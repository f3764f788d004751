#pragma once

class CFrameWndEx;
class IFramePeer;
class QWidget;

IFramePeer* CreateFrameWindow(CFrameWndEx* frame, QWidget* parent);

/// OnIdle of all frames.
void TellFramesIdle();
/// Frames that have a window.
int GetFrameCount();
/// Alt and a letter, which nothing else used: opens the popup of the menu bar that has it as its access key.
bool OpenMenuByKey(QWidget* window, int key);
