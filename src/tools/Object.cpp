#include "tools/Object.h"
