// A plugin that shows nothing and returns a number.
extern "C" __attribute__((visibility("default"))) int plugin_exec()
{
	return 4711;
}
