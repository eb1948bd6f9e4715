// A plugin for a host that offers more than this one.
class eWidget;
void eSomethingElse(eWidget *);

extern "C" __attribute__((visibility("default"))) int plugin_exec()
{
	eSomethingElse(nullptr);
	return 0;
}
