#include "csp/constructs.h" // which checks the table when the library is built
