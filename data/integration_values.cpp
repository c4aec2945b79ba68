#include "data/integration_values.h"

namespace {
IntegrationValues values{};
}

IntegrationValues& integrationValues() { return values; }

void clearEffectScriptOffsets() {
    values.effectScriptXOffset = values.effectScriptYOffset = values.effectScriptZOffset = 0.0f;
    values.effectScriptPitchOffset = values.effectScriptHeadingOffset = values.effectScriptRollOffset = 0.0f;
}
