// The gallery's windows: every control, and the dialogs that no window of the program opens.
#pragma once

class Pictures;

void ShowControls(Pictures& pictures);
void ShowLists(Pictures& pictures);
void ShowMenusAndBars(Pictures& pictures);
void ShowDialogs(Pictures& pictures);
void ShowSplashAndAbout(Pictures& pictures);
