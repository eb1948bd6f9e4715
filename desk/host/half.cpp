#include "half.h"

#include "desk.h"
#include "desk_error.h"
#include "files.h"
#include "language.h"
#include "last_words.h"
#include "plugin.h"
#include "trace.h"

#include <filesystem>
#include <memory>
#include <string>
#include <utility>

namespace desk
{

namespace
{

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
