// Why the TLS gateway ended by itself, as its exit status: the one thing that it can tell the
// script that started it, having no streams.
export const kGatewayExit = Object.freeze({
  portInUse: 3,
  configurationInvalid: 4,
  certificateNotValidNow: 5,
});
