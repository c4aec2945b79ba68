// Linked only into the spacer build of the plug-in: a 40-boxel band above the Control
// Panel's contents and menus moves every control, and the panel scenarios must pass
// unchanged, since they find controls by label.
int controlPanelTestSpacer() { return 40; }
