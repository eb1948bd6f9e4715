#include "half.h"

#include "desk.h"
#include "desk_error.h"
#include "files.h"
#include "last_words.h"
#include "plugin.h"
#include "texts.h"
#include "trace.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>

namespace desk
{

namespace
{

/// The folder of this program's own catalogues, in the build tree or installed.
std::string ownCatalogues()
{
	namespace fs = std::filesystem;
	std::error_code failed;
	const fs::path folder = fs::read_symlink("/proc/self/exe", failed).parent_path();
	for (const char *place : {"../po", DESK_INSTALLED_CATALOGUES})
		if (fs::exists(folder / place, failed))
			return (folder / place).lexically_normal();
	return (folder / "../po").lexically_normal();
}

/// Shows the texts of the plugin and of the host in `lang`. `catalogue` is DOMAIN[:FOLDER], by default this program's
/// folder. Throws an Error when there is no usable catalogue.
void setLanguage(const std::string &lang, const std::string &catalogue)
{
	const size_t colon = std::min(catalogue.find(':'), catalogue.size());
	const std::string folder = colon < catalogue.size() ? catalogue.substr(colon + 1) : ownCatalogues();
	Desk::get().word = [](const char *id) { return Texts::get().word(id); };
	Texts::get().setLanguage(lang, folder, catalogue.substr(0, colon));
	Texts::get().setWords(ownCatalogues());
}

void prepare(const Start &start, Peer &viewer)
{
	Skin skin = Skin::parse(start.skin, "skin");
	if (start.rowHeight > 0)
		skin.setValue("fontsize", start.rowHeight);
	Desk::get().setSkin(std::move(skin));
	Desk::get().setViewer(&viewer, start.draws, start.describes);
	Desk::get().onExit = sayExit;
	if (!start.lang.empty())
		setLanguage(start.lang, start.catalogue);
	if (!start.root.empty())
		Files::get().setRoot(start.root, start.served, start.contained);
	else if (!start.asIs)
		Files::get().makeReceiver();
	if (start.traces)
		Trace::get().start(
			[&viewer](const std::string &line) {
				viewer.send(Call{line, false});
			},
			[&viewer](const std::string &line) {
				viewer.send(Call{line, true});
			});
	else
		Trace::get().startRemembering();
}

} // namespace

int runHalf(Peer &viewer)
try {
	const std::optional<ToHost> first = viewer.receive();
	const Start *start = first ? std::get_if<Start>(&*first) : nullptr;
	if (!start)
		return statusBadArguments;
	prepare(*start, viewer);

	std::error_code failed;
	const std::filesystem::path folder = std::filesystem::current_path(failed);
	std::unique_ptr<Plugin> plugin;
	while (const std::optional<ToHost> message = viewer.receive()) {
		if (std::holds_alternative<Load>(*message)) {
			std::filesystem::current_path(folder, failed); // the last run may have changed it
			Trace::get().forgetEvent();
			plugin = Plugin::load(start->plugin);
			viewer.send(Loaded());
		} else if (const Run *run = std::get_if<Run>(&*message); run && plugin) {
			keepConsole(run->console);
			Desk::get().beginRun(run->again);
			const int result = plugin->exec();
			Desk::get().endRun();
			plugin.reset();
			viewer.send(Returned{result});
		}
	}
	plugin.reset();
	Trace::get().stop();
	Desk::get().setViewer(nullptr);
	return 0;
} catch (const Error &error) {
	viewer.send(Failed{error.status, error.line});
	return error.status;
}

} // namespace desk
