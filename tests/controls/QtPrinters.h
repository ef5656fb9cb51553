#pragma once

#include "support/QtPrinters.h"
