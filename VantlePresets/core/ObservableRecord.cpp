// SPDX-License-Identifier: MIT
#include "VantlePresets/core/ObservableRecord.h"

namespace vantle {

ObservableRecord::ObservableRecord() = default;
ObservableRecord::~ObservableRecord() = default;

} // namespace vantle
