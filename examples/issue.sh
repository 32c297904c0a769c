#!/bin/sh
# Makes, in the current folder, root.pem (a certificate to trust) and signer.p12 (a bundle; its password is "secret").
set -e
openssl req -x509 -newkey rsa:2048 -nodes -days 365 -subj "/CN=Example root" -keyout root.key -out root.pem
openssl req -x509 -newkey rsa:2048 -nodes -days 365 -subj "/CN=Example signer" -CA root.pem -CAkey root.key \
    -addext keyUsage=digitalSignature -keyout signer.key -out signer.pem
openssl pkcs12 -export -inkey signer.key -in signer.pem -certfile root.pem -passout pass:secret -out signer.p12
