#pragma once

class CCustomList;
class IListPeer;
class QWidget;

IListPeer* CreateListView(CCustomList* list, QWidget* parent);
