#include "setup/SetupOutcomes.h"

#include <array>

namespace veltrix {
namespace {

constexpr std::array<Outcome, 15> kOutcomes{{
    {"tls_configured_stopped",
     "Certificate validated; gateway stays stopped. Client devices must also trust its issuer."},
    {"tls_untrusted_issuer",
     "Certificate issuer is not trusted. Supply a valid chain or explicitly approved local CA."},
    {"tls_hostname_mismatch", "Certificate does not cover the configured server address."},
    {"tls_key_mismatch", "Certificate and private key do not match."},
    {"tls_key_permissions", "Private key must be owned by this account with mode 0600."},
    {"unprivileged_tls_port_required",
     "Use a free HTTPS port above 1023, such as 8443, or an existing external TLS proxy."},
    {"gateway_port_conflicts_backend",
     "Port 3000 belongs to the backend. Choose another HTTPS port."},
    {"existing_login_requires_dashboard",
     "Existing login policy preserved. Use account management for changes."},
    {"existing_state_requires_dashboard",
     "Existing account or recordings preserved. Use the dashboard for management."},
    {"saved_peer_missing", "No saved approval credential. Existing account state was preserved; "
                           "use account management for recovery."},
    {"saved_peer_scope_mismatch", "Saved approval does not match this server, installation or "
                                  "account. No credentials were replaced."},
    {"saved_peer_lease_invalid",
     "Saved approval lease is expired or invalid. Choose Renew Saved Approval."},
    {"saved_peer_renewal_retry", "Renewal did not finish. Retry Renew Saved Approval within 60 "
                                 "seconds; the prior operation is preserved."},
    {"saved_peer_reapproval_required",
     "Renewal requires owner reapproval. Existing credentials were preserved; contact support "
     "without resetting this installation."},
    {"existing_tls_configuration",
     "Existing TLS settings preserved. Use a reviewed certificate replacement."},
}};

}  // namespace

std::span<const Outcome> setupOutcomes() {
    return kOutcomes;
}

std::string_view setupSentence(std::string_view code) {
    return sentenceFor(code, kOutcomes, kSetupFailedSentence);
}

}  // namespace veltrix
