#pragma once

#include <QString>

class IProgressSink;
class QWidget;

IProgressSink* CreateProgressWindow(QWidget* parent, const QString& title);
