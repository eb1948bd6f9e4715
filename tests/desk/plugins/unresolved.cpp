// A plugin that needs a function which this host lacks.
class eWidget;
void eSomethingElse(eWidget *);

extern "C" __attribute__((visibility("default"))) int plugin_exec()
{
	eSomethingElse(nullptr);
	return 0;
}
