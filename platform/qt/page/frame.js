// Serves the document of a frame: everything goes over one port to the top frame.
(function ({ watch, keepArmed }, hearSubmissions, config) {
    function serveFrame(agent) {
        const { port1: port, port2 } = new MessageChannel();
        const watching = watch(agent, () => port.postMessage({ event: 'complete', url: agent.url }));
        const leave = (event) => {
            if (event.isTrusted)
                port.postMessage({ event: 'gone' });
        };
        const arm = () => {
            watching.arm();
            hearSubmissions(agent, (submission) => port.postMessage({ event: 'submit', ...submission }));
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
        port.onmessage = ({ data }) => {
            let value = null;
            try {
                value = carryOut(data.ask, data.value);
            } catch (error) {
                // Answered with nothing: the top frame need not wait for its clock.
            }
            if (data.number)
                port.postMessage({ answer: data.number, value });
        };
        window.top.postMessage({ token: config.token, id: agent.id, url: agent.url }, '*', [port2]);
    }

    return serveFrame;
})
