#pragma once

#include <QString>

// Renders the module's windows and controls, headless, to PNG files in dir. Returns the
// number of PNG files the folder then holds.
int RenderScreenshots(const QString& dir);
