#pragma once

class CCustomTree;
class ITreePeer;
class QWidget;

ITreePeer* CreateTreeView(CCustomTree* tree, QWidget* parent);
