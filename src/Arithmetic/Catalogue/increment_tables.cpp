#include "velorim/machine_functions.h"

// In the order result, first, second, third argument.
const mint UnitIncrements[4] = {1, 1, 1, 1};
const mint ZeroIncrements[4] = {0, 0, 0, 0};
const mint UnitRIncrements[4] = {1, 0, 0, 0};
const mint UnitXIncrements[4] = {0, 1, 0, 0};
const mint UnitRXIncrements[4] = {1, 1, 0, 0};
const mint UnitYIncrements[4] = {0, 0, 1, 0};
const mint UnitRYIncrements[4] = {1, 0, 1, 0};
const mint UnitZIncrements[4] = {0, 0, 0, 1};
const mint UnitRZIncrements[4] = {1, 0, 0, 1};
const mint UnitRXYIncrements[4] = {1, 1, 1, 0};
const mint UnitXYIncrements[4] = {0, 1, 1, 0};
const mint UnitRXZIncrements[4] = {1, 1, 0, 1};
const mint UnitXZIncrements[4] = {0, 1, 0, 1};
const mint UnitRYZIncrements[4] = {1, 0, 1, 1};
const mint UnitYZIncrements[4] = {0, 0, 1, 1};
const mint UnitXYZIncrements[4] = {0, 1, 1, 1};
