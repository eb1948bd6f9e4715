// A shared object without plugin_exec.
extern "C" __attribute__((visibility("default"))) int something_else()
{
	return 0;
}
