#include "Tables.h"
