#pragma once
// A lower unit that reaches up into the window's state: the layer check must refuse it.
#include "app/Module1.h"
