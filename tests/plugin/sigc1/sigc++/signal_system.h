// A stand-in for a 1.x signal library: as much of its interface as the plugin uses, to see that the
// plugin builds on one without the layer over 3.0.
#ifndef SIGC1_STANDIN_SIGNAL_SYSTEM_H
#define SIGC1_STANDIN_SIGNAL_SYSTEM_H

namespace SigC
{

class ObjectBase
{
public:
	virtual void reference() const;
	virtual void unreference() const;
	virtual void set_manage();
	virtual ~ObjectBase();

private:
	int count;
};

class Object : public virtual ObjectBase
{
};

class Connection
{
};

template <class R> class Slot0
{
};

template <class R, class P1> class Slot1
{
public:
	Slot1() = default;
	template <class Other> Slot1(const Slot1<R, Other> &) { static_cast<void>(static_cast<Other>(P1())); }
};

template <class R> class Signal0
{
public:
	Connection connect(const Slot0<R> &) { return Connection(); }
	R emit() { return R(); }
	R operator()() { return R(); }
};

template <class R, class P1> class Signal1
{
public:
	Connection connect(const Slot1<R, P1> &) { return Connection(); }
	R emit(P1) { return R(); }
	R operator()(P1) { return R(); }
};

template <class T, class Base, class R> Slot0<R> slot(T &object, R (Base::*)())
{
	static_cast<void>(static_cast<Base &>(object));
	return Slot0<R>();
}

template <class T, class Base, class R, class P1> Slot1<R, P1> slot(T &object, R (Base::*)(P1))
{
	static_cast<void>(static_cast<Base &>(object));
	return Slot1<R, P1>();
}

} // namespace SigC

#endif
