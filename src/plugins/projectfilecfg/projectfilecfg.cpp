#include "projectfilecfg.h"

projectfilecfg::projectfilecfg() = default;
