#pragma once

#include "scene/Init.h"
