#include "signals.h"

/// Tells the library whose end ends a call.
template <> struct sigc::visitor<SigC::Call>
{
	template <class Action> static void do_visit_each(const Action &action, const SigC::Call &call)
	{
		action(call.lifetime());
	}
};

namespace SigC
{

SignalBase::SignalBase() = default;

SignalBase::~SignalBase() = default;

Connection SignalBase::add(const Call &call)
{
	return calls.connect(call);
}

void SignalBase::run(void *argument) const
{
	calls.emit(argument);
}

} // namespace SigC
