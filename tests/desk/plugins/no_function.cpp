// A plugin whose entry is no function.
extern "C" {
__attribute__((visibility("default"))) int plugin_exec = 5;
}
