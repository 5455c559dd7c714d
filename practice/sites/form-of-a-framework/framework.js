// A framework in small: the state says what a control shows, and each render writes it there. Like the large ones it
// notes what its own code wrote into a control, so that it hears of a value only when somebody else has changed it.
const ledger = (() => {
    const changed = new WeakMap();

    function note(control, property) {
        const own = Object.getOwnPropertyDescriptor(Object.getPrototypeOf(control), property);
        let last = own.get.call(control);
        Object.defineProperty(control, property, {
            configurable: true,
            get: () => own.get.call(control),
            set: (value) => { own.set.call(control, value); last = own.get.call(control); },
        });
        changed.set(control, () => {
            const now = own.get.call(control);
            const different = now !== last;
            last = now;
            return different;
        });
    }

    return (form, state) => {
        const render = () => {
            for (const control of form.elements) {
                const property = control.type === 'checkbox' ? 'checked' : 'value';
                if (control.name in state && control[property] !== state[control.name])
                    control[property] = state[control.name];
            }
        };
        for (const control of form.elements) {
            if (control.name in state)
                note(control, control.type === 'checkbox' ? 'checked' : 'value');
        }
        const hear = (event) => {
            const control = event.target;
            const kind = control.type === 'checkbox' ? 'click' : control.localName === 'select' ? 'change' : 'input';
            if (event.type === kind && changed.has(control) && changed.get(control)())
                state[control.name] = control.type === 'checkbox' ? control.checked : control.value;
            requestAnimationFrame(render);
        };
        for (const type of ['input', 'change', 'click'])
            form.addEventListener(type, hear);
        form.addEventListener('submit', (event) => {
            event.preventDefault();
            render();
            HTMLFormElement.prototype.submit.call(form);
        });
        render();
        setInterval(render, 20);
    };
})();
