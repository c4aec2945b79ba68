// Stand-ins for entry points whose features come later; see pending_actions.h.
#include "shell/pending_actions.h"

#include "shell/host_interface.h"

namespace {
void notYet(const char* what) { logMessage("%s is not available in this build", what); }
bool targetInformation = true;
}  // namespace

bool ControlPanelAction(int op) {
    if (op == 1) notYet("The Control Panel");
    return false;
}

bool MiniControlPanelAction(int op) {
    if (op == 1) notYet("The Mini Control Panel");
    return false;
}

void SettingsPanelAction(bool) { notYet("The Settings panel"); }
void openSaveTargetPanel() { notYet("Saving a target"); }
void toggleTrafficDisplay() { notYet("The Traffic Display"); }

bool& showTargetInformation() { return targetInformation; }
void selectNearestTarget() { notYet("Target selection"); }
void selectNextTarget() { notYet("Target selection"); }
void selectPreviousTarget() { notYet("Target selection"); }
void selectFreeTarget() { notYet("The Free Target"); }
bool freeTargetSelected() { return false; }
void endFreeTargetAim(Camera*) {}

void toggleAiPerspective() { notYet("The AI perspective"); }
void selectNextAiPlane() { notYet("The AI perspective"); }
void selectPreviousAiPlane() { notYet("The AI perspective"); }
void selectNextDistantAiPlane() { notYet("The AI perspective"); }
void selectPreviousDistantAiPlane() { notYet("The AI perspective"); }
void aiScaleUp() { notYet("The AI perspective"); }
void aiScaleDown() { notYet("The AI perspective"); }
