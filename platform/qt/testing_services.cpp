// The one instance of the test hooks.
#include "platform/qt/testing_services.h"

ServicesTestHooks services_test_hooks;
