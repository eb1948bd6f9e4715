// A plugin whose plugin_exec is not a function.
extern "C" {
__attribute__((visibility("default"))) int plugin_exec = 5;
}
