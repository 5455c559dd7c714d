// Serves the document of a frame: everything goes over one port to the top frame.
(function ({ watch, keepArmed }, hearSubmissions, { Sender, Receiver }, config) {
    // Introduces a document to the top frame, and gives the port and the two ends of the connection.
    function connect(introduction) {
        const { port1: port, port2 } = new MessageChannel();
        const up = new Sender(config.up);
        window.top.postMessage(up.seal({ ...introduction, origin: window.origin }), '*', [port2]);
        return { port, tell: (value) => port.postMessage(up.seal(value)), down: new Receiver(config.down) };
    }

    function serveFrame(agent) {
        const { port, tell, down } = connect({ id: agent.id, url: agent.url });
        const watching = watch(agent, () => tell({ event: 'complete', url: agent.url }));
        const leave = (event) => {
            if (event.isTrusted)
                tell({ event: 'gone' });
        };
        const arm = () => {
            watching.arm();
            hearSubmissions(agent, (submission) => tell({ event: 'submit', ...submission }));
            window.addEventListener('pagehide', leave, true);
        };
        arm();
        keepArmed(arm);
        const carryOut = (ask, value) => {
            if (ask === 'image')
                return agent.image(value);
            if (ask === 'pointAt' || ask === 'focusPlace')
                return agent[ask](value);
            if (ask === 'apply')
                agent.apply(value);
            else if (ask === 'stop')
                watching.complete();
            return null;
        };
        port.onmessage = (message) => {
            const data = down.open(message.data);
            if (!data || data.id !== agent.id)
                return;
            let value = null;
            try {
                value = carryOut(data.ask, data.value);
            } catch (error) {
                // Answered with nothing: the top frame need not wait for its clock.
            }
            if (data.number)
                tell({ answer: data.number, value });
        };
    }

    return { connect, serveFrame };
})
