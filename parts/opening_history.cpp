#include "parts/opening_history.h"

#include "parts/part_state.h"

bool partBuildsOnEveryFrame(int32_t part) { return part == 1; }

OpeningState keepOpeningState() {
    return {keepWorldState(*g_testWorld), g_revealIndex, g_revealArmed, g_logoSlideStart, g_riseStart};
}

void restoreOpeningState(const OpeningState& state) {
    restoreWorldState(*g_testWorld, state.scene);
    g_revealIndex = state.revealIndex;
    g_revealArmed = state.revealArmed;
    g_logoSlideStart = state.logoSlideStart;
    g_riseStart = state.riseStart;
}
