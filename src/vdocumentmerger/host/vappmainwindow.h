#pragma once

#include <QMainWindow>

#include "host/ivappcontainer.h"

// The host's main window. It is also a container: the host hands it out as one,
// and the add-on recovers the window with a run-time type check.
class VAppMainWindow : public QMainWindow, public AppFrameWork::IVAppContainer {
public:
    explicit VAppMainWindow(QWidget *parent = nullptr) : QMainWindow(parent) {}
    ~VAppMainWindow() override = default;
};
