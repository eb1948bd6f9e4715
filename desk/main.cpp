#include "app.h"

int main(int argc, char **argv)
{
	return desk::runApp(argc, argv);
}
