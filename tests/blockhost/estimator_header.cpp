#include "estimator.h"
