// The one instance of the test hooks.
#include "testing_services.h"

ServicesTestHooks services_test_hooks;
