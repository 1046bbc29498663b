#!/usr/bin/env bash
# tls_certificates.sh DIRECTORY: makes certificates and their keys there, NAME.pem and NAME.key,
# with "authority" as the one that signs them where nothing else is said. In trusted.pem are the
# authorities to trust: that one with its revocation list, which is out of date, and one without.
set -euo pipefail
cd "$1"

cat >request.cnf <<'CNF'
[req]
distinguished_name=name
[name]
[authority]
basicConstraints=critical,CA:true
CNF

# selfSigned NAME OPTION...
selfSigned() {
    openssl req -x509 -config request.cnf -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes \
        -keyout "$1.key" -out "$1.pem" -subj "/CN=$1" -days 30 "${@:2}"
}

# signed NAME AUTHORITY START END
signed() {
    openssl req -config request.cnf -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes \
        -keyout "$1.key" -out "$1.csr" -subj "/CN=$1"
    : >issued
    cat >issue.cnf <<CNF
[ca]
default_ca=own
[own]
database=issued
new_certs_dir=.
rand_serial=yes
default_md=sha256
policy=any
[any]
commonName=supplied
[names]
subjectAltName=DNS:$1.localhost,DNS:asking.localhost,DNS:old.localhost,DNS:strict.localhost,DNS:strict12.localhost
CNF
    openssl ca -batch -notext -config issue.cnf -extensions names -in "$1.csr" -out "$1.pem" \
        -cert "$2.pem" -keyfile "$2.key" -startdate "$3" -enddate "$4"
}

selfSigned authority -extensions authority
selfSigned listless -extensions authority
selfSigned stranger -extensions authority
selfSigned self -addext subjectAltName=DNS:self.localhost
signed good authority 20200101000000Z 20991231000000Z
signed expired authority 20200101000000Z 20200201000000Z
signed early authority 20991201000000Z 20991231000000Z
signed unknown stranger 20200101000000Z 20991231000000Z
signed unlisted listless 20200101000000Z 20991231000000Z
signed revoked authority 20200101000000Z 20991231000000Z

# revocationList OPTION...: an action of the authority.
revocationList() {
    openssl ca -config issue.cnf -cert authority.pem -keyfile authority.key "$@"
}
revocationList -revoke revoked.pem
revocationList -gencrl -crl_lastupdate 20200101000000Z -crl_nextupdate 20200201000000Z -out revoked.crl
cat authority.pem listless.pem revoked.crl >trusted.pem
