import java.io.File;
import java.io.FileInputStream;
import java.security.KeyStore;
import java.security.PrivateKey;
import java.security.cert.X509Certificate;
import java.util.Arrays;
import java.util.Collections;

import org.apache.poi.openxml4j.opc.OPCPackage;
import org.apache.poi.openxml4j.opc.PackageAccess;
import org.apache.poi.poifs.crypt.HashAlgorithm;
import org.apache.poi.poifs.crypt.dsig.SignatureConfig;
import org.apache.poi.poifs.crypt.dsig.SignatureInfo;
import org.apache.poi.poifs.crypt.dsig.SignaturePart;
import org.apache.poi.poifs.crypt.dsig.facets.KeyInfoSignatureFacet;
import org.apache.poi.poifs.crypt.dsig.facets.OOXMLSignatureFacet;

/**
 * What Apache POI says of signed packages, a line for each: valid, broken, none, or failed with the reason. With --sign it
 * signs them first, by the key in a PKCS#12 bundle with the password "secret".
 *
 * PoiJudge [--sign BUNDLE] FILE...
 */
public class PoiJudge {
    private static SignatureInfo open(OPCPackage opened, SignatureConfig config) {
        config.setOpcPackage(opened);
        SignatureInfo info = new SignatureInfo();
        info.setSignatureConfig(config);
        return info;
    }

    private static String verify(String path) {
        try (OPCPackage opened = OPCPackage.open(path, PackageAccess.READ)) {
            String result = "none";
            for (SignaturePart part : open(opened, new SignatureConfig()).getSignatureParts()) {
                if (!part.validate())
                    return "broken";
                result = "valid";
            }
            return result;
        } catch (Throwable failure) {
            return "failed: " + failure;
        }
    }

    private static void sign(String path, String bundle) throws Exception {
        KeyStore store = KeyStore.getInstance("PKCS12");
        char[] password = "secret".toCharArray();
        try (FileInputStream stream = new FileInputStream(bundle)) {
            store.load(stream, password);
        }
        String alias = store.aliases().nextElement();
        SignatureConfig config = new SignatureConfig();
        config.setKey((PrivateKey) store.getKey(alias, password));
        config.setSigningCertificateChain(Collections.singletonList((X509Certificate) store.getCertificate(alias)));
        config.setDigestAlgo(HashAlgorithm.sha256);
        // without XAdES, whose elements it doesn't find under this JDK
        config.setSignatureFacets(Arrays.asList(new OOXMLSignatureFacet(), new KeyInfoSignatureFacet()));
        try (OPCPackage opened = OPCPackage.open(new File(path), PackageAccess.READ_WRITE)) {
            open(opened, config).confirmSignature();
        }
    }

    private static String signAndVerify(String path, String bundle) {
        try {
            sign(path, bundle);
        } catch (Throwable failure) {
            return "failed: " + failure;
        }
        return verify(path);
    }

    public static void main(String[] arguments) throws Exception {
        boolean signs = arguments.length > 0 && arguments[0].equals("--sign");
        for (int i = signs ? 2 : 0; i < arguments.length; ++i) {
            System.out.println(signs ? signAndVerify(arguments[i], arguments[1]) : verify(arguments[i]));
        }
    }
}
