#include "app.h"
#include "supervisor.h"

int main(int argc, char **argv)
{
	return desk::supervise([&] { return desk::runApp(argc, argv); });
}
