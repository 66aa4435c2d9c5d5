// Every screen of the demo host, and what the pages share.
#ifndef QUILL_DEMO_PAGES_H
#define QUILL_DEMO_PAGES_H

#include "demo/session.h"

extern const Screen kLoginScreen, kMenuScreen, kGoodbyeScreen;
extern const Screen kLineDrawingPage, kDoubleSizePage, kAttributesPage;
extern const Screen kRegionsPage, kTabsPage;
extern const Screen kSlowStreamPage, kFastStreamPage;
extern const Screen kCharactersPage;
extern const Screen kFormPage, kShipListPage;
extern const Screen kReportsPage, kKeysPage;

// `typed` of a page that any key leaves.
void BackToMenu(Session& session, const std::string& bytes);

constexpr const char kAnyKey[] = "Press any key to return to the menu";

#endif
